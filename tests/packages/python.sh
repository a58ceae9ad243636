# The wheel, installed into a fresh environment and nothing from the network: its tag, what is in it and what it needs.

install_missing python3-venv python3-numpy python3-pil python3-pytest

wheel() {
    /usr/bin/python3 -m venv --system-site-packages "$scratch/environment"
    "$scratch/environment/bin/pip" install -q --no-index --disable-pip-version-check "$release"/*.whl
    cd tests/python
    PYTHONDONTWRITEBYTECODE=1 "$scratch/environment/bin/python" -m pytest -q -p no:cacheprovider test_wheel.py
}

part wheel wheel
