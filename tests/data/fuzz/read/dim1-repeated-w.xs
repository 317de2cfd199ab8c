!filetype xs i,s
!fileversion 1
!target H2O
!projectile e
!shell 1
!eproj 1
0 1
0 2
