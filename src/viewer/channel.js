// Gives a viewer page what it posts its messages to. What is posted before the channel stands waits for it.
(function () {
  'use strict';
  if (window.location.protocol !== 'file:')
    return;
  const waiting = [];
  let send = text => waiting.push(text);
  const tuppi = {
    postMessage(body) {
      const text = JSON.stringify(body); // now: the page may change the object afterwards
      if (text !== undefined)
        send(text);
    },
  };
  window.webkit = {messageHandlers: {tuppi}};
  new QWebChannel(qt.webChannelTransport, channel => {
    send = text => channel.objects.tuppi.post(text);
    waiting.splice(0).forEach(send);
  });
})();
