!filetype    xs i,d
!fileversion 20080825
!filedate    Mon Nov 23 19:15:34 2026
!target      H2O
!projectile  p
#
!shell       2

!eproj      100
!esec       0.01
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-1 1E-16 0
0 3E-16 0.444444
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
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-1 5E-17 0
1 6E-17 1
#
!shell       0

!eproj      100 0.0137324
!esec       0.01
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-1 1.5E-16 0
1 3.6E-16 0.688889
1 2E-16 1
!esec       1
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-1 1E-17 0
1 4E-17 1
!eproj      200 0.01473
!esec       1
#<cos(theta)> <dsigma_di/dE/dOmega/cm**2/keV/sr>
-0.5 2E-17 0
0.5 3E-17 1
