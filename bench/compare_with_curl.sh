#!/usr/bin/env bash
# Times the HTTP transport and curl against the same loopback nginx, in one run:
#   1. 1,000 sequential POSTs (1 KB up, 4 KB down), a new connection each:
#      one curl command line with 1,000 requests joined by --next, each sending
#      "Connection: close" (as our client does without KeepAlive), against
#      BM_SequentialSmallPosts.
#   2. A 50 MB body over TLS: curl --cacert against BM_TlsLargeBody.
# Usage: bench/compare_with_curl.sh [build-dir]   (default build)
set -euo pipefail
build="${1:-build}"
bench="$build/bench/http_transport_bench"
[ -x "$bench" ] || { echo "build $bench first (make bench)"; exit 1; }
dir=$(mktemp -d /tmp/orvelan-bench-XXXXXX)
trap 'kill $(cat "$dir/nginx.pid" 2>/dev/null) 2>/dev/null || true; rm -rf "$dir"' EXIT
free_port() { python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'; }
http_port=$(free_port); https_port=$(free_port)

cd "$dir"
openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.pem -days 2 -subj '/CN=Bench CA' 2>/dev/null
openssl req -newkey rsa:2048 -nodes -keyout server.key -out server.csr -subj '/CN=localhost' 2>/dev/null
printf 'subjectAltName=IP:127.0.0.1,DNS:localhost\n' > san.ext
openssl x509 -req -in server.csr -CA ca.pem -CAkey ca.key -CAcreateserial -days 2 -extfile san.ext \
  -out server.pem 2>/dev/null
mkdir -p www tmp
head -c 4096 /dev/urandom > www/post4k
head -c $((50 * 1024 * 1024)) /dev/urandom > www/50m.bin
head -c 1024 /dev/zero | tr '\0' q > 1k.bin
user_line=""; [ "$(id -u)" = 0 ] && user_line="user root;"
cat > nginx.conf <<CONF
$user_line
daemon on; master_process off; worker_processes 1;
pid $dir/nginx.pid; error_log $dir/error.log warn;
events { worker_connections 1024; }
http {
  access_log off; client_body_temp_path $dir/tmp; default_type application/octet-stream;
  server { listen 127.0.0.1:$http_port; root $dir/www; error_page 405 =200 \$uri; }
  server { listen 127.0.0.1:$https_port ssl; root $dir/www; error_page 405 =200 \$uri;
           ssl_certificate $dir/server.pem; ssl_certificate_key $dir/server.key; }
}
CONF
nginx -p "$dir" -c "$dir/nginx.conf" -e "$dir/error.log"
for _ in $(seq 100); do curl -s -o /dev/null "http://127.0.0.1:$http_port/post4k" && break; sleep 0.05; done
cd - >/dev/null

http_url="http://127.0.0.1:$http_port/post4k"
args=()
for i in $(seq 1000); do
  [ "$i" -gt 1 ] && args+=(--next)
  args+=(-s -o /dev/null -H "Connection: close" -H "Content-Type: application/x-ofx" --data-binary "@$dir/1k.bin" "$http_url")
done
now() { date +%s.%N; }
echo "== 1,000 sequential POSTs, new connection each"
for run in 1 2 3; do
  t0=$(now); curl "${args[@]}"; t1=$(now)
  echo "curl run $run: $(echo "($t1 - $t0) * 1000" | bc) ms"
done
ORVELAN_BENCH_HTTP_URL="$http_url" "$bench" --benchmark_filter=SequentialSmallPosts

echo "== 50 MB body over TLS"
# curl's own time_total leaves out its process start, as the benchmark leaves
# out ours; the comparison is of the medians.
for run in 1 2 3 4 5 6 7; do
  curl -s -o /dev/null -w "curl run $run: %{time_total} s\n" --cacert "$dir/ca.pem" -X POST --data-binary x \
    "https://127.0.0.1:$https_port/50m.bin"
done
ORVELAN_BENCH_HTTPS_URL="https://127.0.0.1:$https_port/50m.bin" ORVELAN_BENCH_CA="$dir/ca.pem" \
  "$bench" --benchmark_filter=TlsLargeBody
