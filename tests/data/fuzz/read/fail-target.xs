!filetype xs i,t
!fileversion 1
!target Kr
