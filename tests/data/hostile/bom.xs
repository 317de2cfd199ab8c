!filetype xs i,t
!fileversion 20080825
!target H2O
!projectile e
!shell 1
0.1 1E-16
