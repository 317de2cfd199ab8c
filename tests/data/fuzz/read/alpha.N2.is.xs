!filetype xs i,s
!fileversion 1
!target N2
!projectile alpha
!shell 1
!eproj 1
0 1e-16
0.5 1e-17
!shell 2
!eproj 1
0 2e-16
0.3 1e-17
