# [differences]
sed 's/0\.25/0.5/; s/^QZ_DMA_ON/* &/' orbit.inp > night.inp
corvale diff orbit.inp night.inp || echo "status $?"
corvale load night.inp --why 7
# [differences]
