"""Zip archives that are the same byte for byte whenever and wherever they are made."""
import os
import time
import zipfile


def moment():
    """SOURCE_DATE_EPOCH, or the earliest that a zip can tell."""
    return max(time.gmtime(int(os.environ.get("SOURCE_DATE_EPOCH", 0)))[:6], (1980, 1, 1, 0, 0, 0))


def write_zip(path, members):
    """members: (name, bytes) in the order in which they are stored."""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        for name, data in members:
            info = zipfile.ZipInfo(name, moment())
            info.compress_type = zipfile.ZIP_DEFLATED
            info.create_system = 3
            info.external_attr = (0o755 if name.endswith((".so", ".dll")) else 0o644) << 16
            archive.writestr(info, data)
