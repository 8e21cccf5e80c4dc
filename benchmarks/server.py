"""nginx on loopback, at the addresses that work.cpp names, with what it serves."""

import base64
import json
import os
import socket
import subprocess
import time

CONFIGURATION = """daemon off;
master_process off; # so that ending the process ends all of it
pid {folder}/pid;
error_log stderr;
events {{ worker_connections 1024; }}
http {{
    access_log off;
    client_body_temp_path {folder}/temporary;
    proxy_temp_path {folder}/temporary;
    fastcgi_temp_path {folder}/temporary;
    uwsgi_temp_path {folder}/temporary;
    scgi_temp_path {folder}/temporary;
    default_type application/octet-stream;
    sendfile on;
    tcp_nopush on; # a head and what follows it come together
    keepalive_requests 1000000;
    ssl_certificate {folder}/localhost.pem;
    ssl_certificate_key {folder}/localhost.key;
    server {{
        listen 127.0.0.1:8080;
        listen 127.0.0.1:8443 ssl;
        listen 127.0.0.1:8444 ssl http2;
        root {folder}/www;
        # Answered when the body has come, as services do: whoever passes it on waits for it.
        location = /answer {{ proxy_pass http://127.0.0.1:8081; }}
        # A file as the answer to a POST.
        location = {service}freeProcess {{ error_page 405 =200 $uri; }}
    }}
    server {{
        listen 127.0.0.1:8081;
        location / {{ return 200 "{answer}"; }}
    }}
}}
"""
PORTS = (8080, 8081, 8443, 8444)
SERVICE = "/convert/public/index.php/v1/asr/"
KIB = 1024
MIB = 1024 * KIB
STORAGE = "https://localhost:8443/speechdesk/voice_avatar/"
AVATARS = ["%E5%A5%B301", "%E5%A5%B302", "avatar_girl", "%E7%94%B701", "%E7%94%B702", "another"]
SIGNATURE = "Expires=1790000000&OSSAccessKeyId=" + 24 * "k" + "&Signature=" + 490 * "s"  # as storages sign
CATEGORIES = ["超高清", "文学", "通用", "英文", "美式英语", "多语种", "方言", "客服", "直播", "童声", "多情感"]


def voice(number):
    return {
        "name": f"小云{number}",
        "voiceParam": f"voice_{number}",
        "type": "标准女声",
        "avatar": f"{STORAGE}{AVATARS[number % len(AVATARS)]}.png",
        "category": CATEGORIES[number % len(CATEGORIES)],
        "scene": "通用场景",
        "audition_url": f"https://localhost:8443/speechdesk/audition/voice_{number}.wav?{SIGNATURE}",
        "supportFeature": "语音合成,长文本语音合成",
    }


def write(path, data):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "wb") as file:
        file.write(data)


def write_answer(folder, name, data):
    document = {"code": 0, "message": "", "data": data}
    write(f"{folder}/www{SERVICE}{name}", json.dumps(document, ensure_ascii=False).encode())


def write_files(folder, voices):
    for name, size in (("200", 200), ("10k", 10 * KIB), ("1m", MIB), ("64m", 64 * MIB), ("1g", 1024 * MIB)):
        write(f"{folder}/www/{name}", b"")
        os.truncate(f"{folder}/www/{name}", size)
    write_answer(folder, "getVoice", {"list": [voice(number) for number in range(voices)]})
    write_answer(folder, "getBackgroundMusic", [])
    audio = base64.b64encode(os.urandom(15 * MIB)).decode()
    write_answer(folder, "freeProcess", {"audio": audio})
    configuration = CONFIGURATION.format(folder=folder, service=SERVICE, answer="x" * 200)
    write(f"{folder}/nginx.conf", configuration.encode())


def listens(port):
    with socket.socket() as probe:
        return probe.connect_ex(("127.0.0.1", port)) == 0


class Server:
    """Runs nginx in a folder that holds the certificates, while it is entered."""

    def __init__(self, folder, voices):
        self.folder = folder
        write_files(folder, voices)

    def __enter__(self):
        taken = [port for port in PORTS if listens(port)]
        if taken:
            raise SystemExit(f"benchmark: port {taken[0]} of this machine is taken")
        path = os.environ["PATH"] + ":/usr/sbin:/sbin"
        command = ["nginx", "-p", self.folder, "-e", f"{self.folder}/early.log", "-c", f"{self.folder}/nginx.conf"]
        self.process = subprocess.Popen(command, env={**os.environ, "PATH": path})
        while not all(listens(port) for port in PORTS):
            if self.process.poll() is not None:
                raise SystemExit("benchmark: nginx does not start")
            time.sleep(0.01)
        return self

    def __exit__(self, *unused):
        self.process.kill()
        self.process.wait()
