!filetype    xs i,t
!fileversion 20080825
!filedate    Tue Aug 26 10:15:00 2008
!target      H2O
!projectile  e
#
!shell       1

#<E_proj> <sigma_xx/cm**2> [<E_loss>]
0.02 1.5E-17
0.1 3.25E-16
1 1.26E-16
#
!shell       2

#<E_proj> <sigma_xx/cm**2> [<E_loss>]
0.02 1.1E-17
1000 2.5E-18
#
!shell       0

#<E_proj> <sigma_xx/cm**2> [<E_loss>]
0.02 2.6E-17 0.0131
0.1 3.25E-16 0.0142
1 1.26E-16 0.0155
1000 2.5E-18 0.0161
