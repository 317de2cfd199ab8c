!filetype xs i,d
!fileversion 1
!target H2O
!projectile p
!shell 1
!eproj 10
!esec nan
-1 1e-16
1 1e-17
