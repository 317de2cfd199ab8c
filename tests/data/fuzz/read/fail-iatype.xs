!filetype xs q,t
