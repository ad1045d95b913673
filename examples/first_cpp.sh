# [build]
c++ -std=c++20 load_file.cpp $(pkg-config --cflags --libs Corvale) -o load_file
./load_file orbit.inp
# [build]
