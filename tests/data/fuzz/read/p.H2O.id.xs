!filetype    xs i,d
!fileversion 20080825
!filedate    Tue Aug 26 10:15:00 2008
!target      H2O
!projectile  p
#
!shell       2

!eproj      100
!esec       0.01
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-1 1E-16 0
0 3E-16 0.4
1 2E-16 1
!esec       1
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-1 1E-17 0
1 4E-17 1
!eproj      200
!esec       1
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-0.5 2E-17 0
0.5 3E-17 1
#
!shell       1

!eproj      100
!esec       0.01
-1 5E-17 0
1 6E-17 1
