!filetype xs i,t
!fileversion 1
!target H2O
!projectile e
!foo 3
1 2
!shell -1
