!filetype xs i,t
!fileversion 1
!target H2O
!projectile e
!shell 1
1 1e-16
1.0000001 2e-16
