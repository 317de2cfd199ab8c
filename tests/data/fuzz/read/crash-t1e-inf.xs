!filetype xs i,s
!fileversion 1
!target H2O
!projectile e
!shell 1
!eproj inf
0 1e-16
1 1e-17
