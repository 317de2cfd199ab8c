!filetype    xs i,s
!fileversion 20080825
!filedate    Tue Aug 26 10:15:00 2008
!target      H2O
!projectile  e
#
!shell       1

!eproj      0.1
#<E_e-/keV> <dsigma_si/dE/cm**2/keV>
0 3.2E-15 0
0.01 2.5E-16 0.4
0.04370 1E-18 1
!eproj      1
#<E_e-/keV> <dsigma_si/dE/cm**2/keV>
0 1.2E-16 0
0.1 2E-17 0.3
0.2 1E-17 0.6
0.4935 1E-18 1
#
!shell       0

!eproj      100 12.5
#<E_e-/keV> <dsigma_si/dE/cm**2/keV>
0.01 3.2E-15 0
1 2.5E-16 0.4
50 1E-18 1
