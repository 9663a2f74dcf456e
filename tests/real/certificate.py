"""A certificate that nobody has reason to trust, for the encrypted servers of the tests."""

import subprocess


def make(folder, name="wrong.test"):
    """Makes certificate.pem and key.pem of that name in the folder and returns their paths."""
    certificate, key = folder / "certificate.pem", folder / "key.pem"
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
         "-subj", f"/CN={name}", "-addext", f"subjectAltName=DNS:{name}",
         "-keyout", str(key), "-out", str(certificate)],
        check=True, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return certificate, key
