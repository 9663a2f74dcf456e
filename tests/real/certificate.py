"""A certificate that nobody has reason to trust, for the encrypted servers of the tests."""

import subprocess


def make(folder):
    """Makes certificate.pem and key.pem in the folder and returns their paths."""
    certificate, key = folder / "certificate.pem", folder / "key.pem"
    subprocess.run(
        ["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
         "-subj", "/CN=wrong.test", "-keyout", str(key), "-out", str(certificate)],
        check=True, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    return certificate, key
