!FileType xs l,s
!FILEVERSION 1
!target  H 
!projectile e
!Shell1
!EPROJ 5 7 9
	-1 1e-16
 0.5 2E-16 0.5 
1,3e-16,1
!shell 3
!eproj 5
-1 1 0