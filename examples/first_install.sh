# [install]
$checkout/scripts/run.sh
cmake --install $checkout/build/release --prefix $prefix
# [install]
# [environment]
export PKG_CONFIG_PATH=$prefix/lib/pkgconfig LD_LIBRARY_PATH=$prefix/lib PATH=$prefix/bin:$PATH
# [environment]
