module corvale

go 1.19
