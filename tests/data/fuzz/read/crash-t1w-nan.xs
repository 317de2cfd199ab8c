!filetype xs i,s
!fileversion 1
!target H2O
!projectile e
!shell 1
!eproj 10
0 1e-16
nan 1e-17
