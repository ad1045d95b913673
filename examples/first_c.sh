# [build]
cc load_file.c $(pkg-config --cflags --libs Corvale) -o load_file
./load_file orbit.inp
# [build]
