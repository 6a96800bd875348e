* The small plan of small.mod, fixed MPS.
NAME          SMALL
ROWS
 N  cost
 L  sup(n)
 L  sup(s)
 G  dem(e)
 G  dem(w)
 L  link
 G  band
 E  fix
COLUMNS
    x(n,e)    cost               2.0   sup(n)             1.0
    x(n,e)    dem(e)             1.0   link               1.0
    x(n,w)    cost               3.0   sup(n)             1.0
    x(n,w)    dem(w)             1.0   fix                1.0
    x(s,e)    cost               4.0   sup(s)             1.0
    x(s,e)    dem(e)             1.0
    x(s,w)    cost               1.0   sup(s)             1.0
    x(s,w)    dem(w)             1.0   band               1.0
    MARKER    'MARKER'                 'INTORG'
    y         cost               5.0   link            -100.0
    z         cost               1.0   band               1.0
    z         fix                1.0
    MARKER    'MARKER'                 'INTEND'
    w         cost               0.5   fix               -1.0
RHS
    RHS       sup(n)           350.0   sup(s)           350.0
    RHS       dem(e)           300.0   dem(w)           300.0
    RHS       band              10.0   fix               40.0
RANGES
    RNG       band             490.0
BOUNDS
 BV BND       y
 UP BND       z                 10.0
 FR BND       w
ENDATA
