e->H2O, i
c:filetype    xs i,t
c:fileversion 20080825
c:filedate    Mon Nov 23 19:21:38 2026

c:target      H2O
c:projectile  e
x: E[keV]
y: si^[cm2@]
p: xlog ylog
c:
c:shell       1
c:
c:E_proj E_scaled beta2 gamma WNorm sigma_xx/cm**2 sigma_scaled E_bind E_kin LET/keVcm**2/g
H: x n1 n2 n3 n4 y5(shell 1),lr1 n6 n7 n8 n9
0.02 -9.4553 7.82734E-05 1.00004 0.0800016 1.5E-17 1.1741E-21 0.01261 0 6322.89
0.1 -7.8461 0.000391275 1.0002 0.400039 3.25E-16 1.27164E-19 0.01261 0 136996
1 -5.54615 0.00390244 1.00196 4.00391 1.26E-16 4.91708E-19 0.01261 0 53112.3
c:
c:shell       2
c:
c:E_proj E_scaled beta2 gamma WNorm sigma_xx/cm**2 sigma_scaled E_bind E_kin LET/keVcm**2/g
H: x n1 n2 n3 n4 y5(shell 2),lr2 n6 n7 n8 n9
0.02 -9.4553 7.82734E-05 1.00004 0.0800016 1.1E-17 8.61008E-22 0.01473 0 5416.33
1000 1.16123 0.88563 2.95695 7913.9 2.5E-18 2.21408E-18 0.01473 0 1230.98
c:
c:shell       0
c:
c:E_proj E_scaled beta2 gamma WNorm sigma_xx/cm**2 sigma_scaled E_bind E_kin LET/keVcm**2/g
H: x n1 n2 n3 n4 y5(shell 0),lr0 n6 n7 n8 n9
0.02 -9.4553 7.82734E-05 1.00004 0.0800016 2.6E-17 2.03511E-21 0.0131 0 11385.6
0.1 -7.8461 0.000391275 1.0002 0.400039 3.25E-16 1.27164E-19 0.0142 0 154270
1 -5.54615 0.00390244 1.00196 4.00391 1.26E-16 4.91708E-19 0.0155 0 65284.8
1000 1.16123 0.88563 2.95695 7913.9 2.5E-18 2.21408E-18 0.0161 0 1345.47
