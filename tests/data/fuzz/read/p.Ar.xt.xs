!filetype xs x,t
!fileversion 1
!target Ar
!projectile p
!shell 1
1 1e-17 0.01
2 3e-17
!shell 2
1 2e-17
2 4e-17
