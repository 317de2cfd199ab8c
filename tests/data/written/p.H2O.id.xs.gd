p->H2O, i
c:filetype    xs i,d
c:fileversion 20080825
c:filedate    Mon Nov 23 19:21:38 2026

c:target      H2O
c:projectile  p
x: 
y: dsi^/dE/dOm^[cm2@/keVsr]
p: ylog
c:
c:shell       2
c:
c:eproj      100
c:esec       0.01 keV
H: x y1(4.32506E-05),lr2 (n1=acos(y1)/3.14159*180) n2(4.32506E-05),lr2
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-1 1E-16 0
0 3E-16 0.444444
1 2E-16 1
c:esec       1 keV
H: x y1(0.00432506),lr2 (n1=acos(y1)/3.14159*180) n2(0.00432506),lr2
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-1 1E-17 0
1 4E-17 1
c:eproj      200
c:esec       1 keV
H: x y1(0.00205771),lr2 (n1=acos(y1)/3.14159*180) n2(0.00205771),lr2
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-0.5 2E-17 0
0.5 3E-17 1
c:
c:shell       1
c:
c:eproj      100
c:esec       0.01 keV
H: x y1(4.32506E-05),lr1 (n1=acos(y1)/3.14159*180) n2(4.32506E-05),lr1
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-1 5E-17 0
1 6E-17 1
c:
c:shell       0
c:
c:eproj      100
c:esec       0.01 keV
H: x y1(4.32506E-05),lr0 (n1=acos(y1)/3.14159*180) n2(4.32506E-05),lr0
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-1 1.5E-16 0
1 3.6E-16 0.688889
1 2E-16 1
c:esec       1 keV
H: x y1(0.00432506),lr0 (n1=acos(y1)/3.14159*180) n2(0.00432506),lr0
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-1 1E-17 0
1 4E-17 1
c:eproj      200
c:esec       1 keV
H: x y1(0.00205771),lr0 (n1=acos(y1)/3.14159*180) n2(0.00205771),lr0
c:cos(theta) theta dsigma_di/dE/dOmega/cm**2/keV/sr dsigma_si/dE/cm**2/keV
-0.5 2E-17 0
0.5 3E-17 1
