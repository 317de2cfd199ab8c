!filetype xs i,t
!fileversion 1
!target H2O
!projectile e
!shell 1
1 -5
