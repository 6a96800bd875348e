* written by orva
NameStaFile = /tmp/x.sta

pagewidth=  130 
NameWrkDir =
ModelFormat = fixed-mps
ScaleSource = auto
