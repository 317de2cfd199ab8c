!filetype xs b,t
!fileversion 1
!target H2O
!projectile e+
!shell 0
1 1e-16
