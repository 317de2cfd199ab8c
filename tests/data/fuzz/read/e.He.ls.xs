!filetype xs l,s
!fileversion 1
!target He
!projectile e
!shell 0
!eproj 100
-1 1e-16
0 2e-16
1 5e-16
!eproj 200
-1 1e-17
1 4e-17
