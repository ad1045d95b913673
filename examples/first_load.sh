corvale load orbit.inp | tail -n +3 | head -n 7
