!filetype xs i,d
!fileversion 1
!target H
!projectile e
!shell 1
!eproj 50
!esec 1
-1 1e-18
1 2e-18
!esec 5
0 3e-18
