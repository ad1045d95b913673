cd $checkout
# [install]
scripts/run.sh
cmake --install build/release --prefix $prefix
# [install]
# [environment]
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig LD_LIBRARY_PATH=$prefix/lib PATH=$prefix/bin:$PATH
# [environment]
