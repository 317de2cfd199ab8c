!filetype xs i,d
!fileversion 1
!target H2O
!projectile e
!shell 1
!eproj 10
!esec 1
-1 1e-18
1 2e-18
!esec 1.0000001
0 3e-18
