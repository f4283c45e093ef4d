const http = require('node:http');

console.log('Loading 38 postcards');
http.createServer((request, response) => {
  console.log(`${request.method} ${request.url} 200`);
  response.end('<h1>Postcards</h1>');
}).listen(3000, 'localhost', () => console.log('Ready on http://localhost:3000\nWatching src/ for changes'));
