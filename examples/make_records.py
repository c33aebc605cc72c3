"""Makes a file of EBCDIC records (German, CCSID 273) from a UTF-8 text: one record of fixed length per line."""
import argparse
import pathlib


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--text", type=pathlib.Path, required=True)
    parser.add_argument("--length", type=int, required=True)
    parser.add_argument("--out", type=pathlib.Path, required=True)
    options = parser.parse_args()
    lines = options.text.read_text(encoding="utf-8").splitlines()
    options.out.write_bytes(b"".join(line.ljust(options.length).encode("cp273") for line in lines))


if __name__ == "__main__":
    main()
