"""Times ezdxf loading a DXF file and saving it again.
usage: ezdxf_bench.py IN OUT   (prints: load_seconds save_seconds)"""
import sys
import time

import ezdxf

start = time.perf_counter()
doc = ezdxf.readfile(sys.argv[1])
loaded = time.perf_counter()
doc.saveas(sys.argv[2])
saved = time.perf_counter()
print(f"{loaded - start:.3f} {saved - loaded:.3f}")
