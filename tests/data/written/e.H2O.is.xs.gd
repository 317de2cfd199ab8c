e->H2O, i
c:filetype    xs i,s
c:fileversion 20080825
c:filedate    Mon Nov 23 19:21:38 2026

c:target      H2O
c:projectile  e
x: E[keV]
y: dsi^/dE[cm2@/keV]
p: xlog
p: ylog
c:
c:shell       1
c:
c:eproj      0.1
H: x*1 y1(0.1),lr1 n2(0.1),lr1
c:xxx dsigma_si/cm**2/xxx sigma/cm**2
0 3.2E-15 0
0.0249976 2.5E-16 0.803097
0.109239 1E-18 1
c:eproj      1
H: x*1 y1(1),lr1 n2(1),lr1
c:xxx dsigma_si/cm**2/xxx sigma/cm**2
0 1.2E-16 0
0.0249756 2E-17 0.692093
0.0499511 1E-17 0.840398
0.123254 1E-18 1
c:
c:shell       0
c:
c:eproj      100
H: x*1 y1(100),lr0 n2(100),lr0
c:xxx dsigma_si/cm**2/xxx sigma/cm**2
2.27718E-05 3.2E-15 0
0.00227718 2.5E-16 0.217347
0.113859 1E-18 1
