* control file of a run
NameStaFile = /tmp/x/m.sta
NameWrkDir = /tmp/x/
NameScrDir = /tmp/x/
NameScrExt = scr
PageWidth = 130
PageSize = 60
ModelFile = /tmp/x/m.mod
ModelFormat = mathprog
DataFile = /tmp/x/m.dat
InputName = m
ScaleSource = auto
