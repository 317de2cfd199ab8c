!filetype xs l,t
!fileversion 1
!target H2O
!projectile e
!shell 0
10 1e-16
100 2e-16
