// The worker of browser.html: loads the text that it is given.
import { load } from './corvale/index.js';

onmessage = async ({ data }) => {
  const corvale = await load();
  corvale.files.write('orbit.inp', data);
  corvale.loadFile('orbit.inp');
  postMessage([corvale.moicData(1)[0], corvale.sin(1e22), corvale.numToAlpha5(100000)].join(' '));
};
