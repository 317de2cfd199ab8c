!filetype xs i,t
!fileversion 1
!target H2O
!projectile e
!shell 1
1 nan
2 1e-16
