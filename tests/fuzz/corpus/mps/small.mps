* The small plan of small.mod, free MPS.
NAME small
ROWS
 N cost
 L sup(n)
 L sup(s)
 G dem(e)
 G dem(w)
 L link
 G band
 E fix
COLUMNS
 x(n,e) cost 2 sup(n) 1
 x(n,e) dem(e) 1 link 1
 x(n,w) cost 3 sup(n) 1
 x(n,w) dem(w) 1 fix 1
 x(s,e) cost 4 sup(s) 1
 x(s,e) dem(e) 1
 x(s,w) cost 1 sup(s) 1
 x(s,w) dem(w) 1 band 1
 MARKER 'MARKER' 'INTORG'
 y cost 5 link -100
 z cost 1 band 1
 z fix 1
 MARKER 'MARKER' 'INTEND'
 w cost 0.5 fix -1
RHS
 RHS sup(n) 350
 RHS sup(s) 350 dem(e) 300
 RHS dem(w) 300 band 10
 RHS fix 40
RANGES
 RNG band 490
BOUNDS
 BV BND y
 UP BND z 10
 FR BND w
ENDATA
