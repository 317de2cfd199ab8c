!filetype xs i,d
!fileversion 20080825
!target H2O
!projectile p
!shell 1
!eproj 100
!esec 1
-1 1E-17
1 2E-17
!eproj 200
!esec 1
