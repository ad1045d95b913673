% load_file  Loads an input file and prints what its cards set.
%
%     load_file('orbit.inp')
function load_file(name)
  corvale.loadFile(name);
  fprintf('element-set key mode %d, all-key mode %d\n', corvale.elsetKeyMode(), corvale.allKeyMode());
  values = corvale.moicData(128);
  for place = find(values)
    fprintf('MOIC(%d) = %.17g\n', place, values(place));
  end
end
