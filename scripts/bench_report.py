#!/usr/bin/env python3
"""Turns Google Benchmark's JSON (with repetitions) into a table of what the
library measures against its peers: kernel-to-peer ratios of medians, spreads
over input sizes, and costs per call, one row per measure, and writes the same
rows as JSON. Every ratio is computed from medians of the one run given;
nothing is compared across runs or machines. Which peer each measure uses, and
why, is in docs/performance.md."""

import json
import platform
import sys


def load(path):
    with open(path) as f:
        data = json.load(f)
    medians = {}
    for b in data["benchmarks"]:
        if b.get("aggregate_name") == "median":
            medians[b["run_name"]] = b
        elif b.get("run_type") == "iteration" and b["run_name"] not in medians:
            medians[b["run_name"]] = b  # a run without repetitions
    return data["context"], medians


SCALE = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}


def ns(b):
    return b["real_time"] * SCALE[b["time_unit"]]


def main():
    context, m = load(sys.argv[1])
    rows = []

    def row(measure, value, detail=""):
        rows.append({"measure": measure, "value": value, "detail": detail})

    def have(*names):
        return all(n in m for n in names)

    def faster(kernel, peer, measure):
        if have(kernel, peer):
            r = ns(m[peer]) / ns(m[kernel])
            row(measure, f"{r:.2f}x", f"{ns(m[kernel]) / 1e6:.2f} ms vs {ns(m[peer]) / 1e6:.2f} ms")

    faster("NodePath_kernel", "NodePath_std_filesystem",
           "NodePath from text vs std::filesystem::path")
    faster("NodePath_kernel", "NodePath_hand_split", "NodePath from text vs hand-written split")
    faster("NodePath_kernel", "NodePath_boost_filesystem",
           "NodePath from text vs boost::filesystem::path (UTF-8 input)")
    faster("ObjectPath_kernel", "ObjectPath_json_pointer", "to_object_path vs nlohmann json_pointer")

    for arg, label in (("0", "prose"), ("1", "markup")):
        k, x = f"EscapeXml_kernel/{arg}", f"EscapeXml_libxml2/{arg}"
        if have(k, x):
            r = m[k]["items_per_second"] / m[x]["items_per_second"]
            row(f"escape_xml {label} vs libxml2 (characters/s)", f"{r:.2f}x",
                f"{m[k]['items_per_second'] / 1e6:.0f} vs "
                f"{m[x]['items_per_second'] / 1e6:.0f} M chars/s")
        p = f"EscapeXml_pugixml/{arg}"
        if have(k, p):
            r = m[k]["items_per_second"] / m[p]["items_per_second"]
            row(f"escape_xml {label} vs pugixml text output (characters/s)", f"{r:.2f}x")
    if have("EscapeXml_kernel/0", "EscapeXml_memcpy/0"):
        r = m["EscapeXml_kernel/0"]["bytes_per_second"] / m["EscapeXml_memcpy/0"]["bytes_per_second"]
        row("escape_xml prose vs memcpy (bytes/s)", f"{100 * r:.0f} %",
            f"{m['EscapeXml_kernel/0']['bytes_per_second'] / 1e9:.1f} vs "
            f"{m['EscapeXml_memcpy/0']['bytes_per_second'] / 1e9:.1f} GB/s")

    for t in ("NodeId", "NodePath", "ObjectPathSubscript", "ObjectPathElement_name",
              "ObjectPathElement_subscript", "ObjectPath"):
        k = f"Copy_{t}"
        if have(k, "Copy_intrusive_ptr", "Copy_vector4_u16string"):
            r = ns(m[k]) / ns(m["Copy_intrusive_ptr"])
            v = ns(m["Copy_vector4_u16string"]) / ns(m[k])
            size = int(m[k].get("sizeof", 0))
            row(f"copy+destroy {t} vs boost::intrusive_ptr", f"{r:.2f}x",
                f"{ns(m[k]):.2f} ns vs {ns(m['Copy_intrusive_ptr']):.2f} ns; sizeof {size}")
            row(f"copy+destroy {t} vs vector of 4 u16string", f"{v:.1f}x faster")

    if have("Hash_subscript_element_cached"):
        t = ns(m["Hash_subscript_element_cached"])
        row("hash_value of a subscript element, cached", f"{t:.2f} ns")

    for d in ("2", "3", "5"):
        k, p = f"SubToInd_kernel/{d}", f"SubToInd_plain/{d}"
        if have(k, p):
            r = ns(m[k]) / ns(m[p])
            row(f"sub_to_ind, {d} dimensions, vs plain loop", f"{r:.1f}x",
                f"{ns(m[k]):.1f} ns vs {ns(m[p]):.1f} ns")
        for mag, label in (("0", "small"), ("1", "huge")):
            k, p = f"IndToSub_kernel/{d}/{mag}", f"IndToSub_plain/{d}/{mag}"
            if have(k, p):
                r = ns(m[k]) / ns(m[p])
                row(f"ind_to_sub, {d} dimensions, {label} indices, vs plain loop", f"{r:.1f}x",
                    f"{ns(m[k]):.1f} ns vs {ns(m[p]):.1f} ns")
        k0, k1 = f"IndToSub_kernel/{d}/0", f"IndToSub_kernel/{d}/1"
        if have(k0, k1):
            r = ns(m[k1]) / ns(m[k0])
            row(f"ind_to_sub, {d} dimensions, huge vs small indices", f"{r:.2f}x")

    for d in ("2", "3", "5"):
        k, f = f"SubToInd_kernel/{d}", f"SubToInd_floor/{d}"
        if have(k, f):
            row(f"sub_to_ind, {d} dimensions, above its interface's floor",
                f"{ns(m[k]) - ns(m[f]):.1f} ns",
                f"floor (by-value copies, result) {ns(m[f]):.1f} ns")
        for mag in ("0", "1"):
            k, f = f"IndToSub_kernel/{d}/{mag}", f"IndToSub_floor/{d}/{mag}"
            if have(k, f):
                row(f"ind_to_sub, {d} dimensions, above its result's floor",
                    f"{ns(m[k]) - ns(m[f]):.1f} ns",
                    f"floor (the result's record) {ns(m[f]):.1f} ns")

    for k in ("CreateSource_location", "CreateSource_block"):
        if have(k):
            t = ns(m[k])
            row(f"{k} after the first call", f"{t:.0f} ns")

    for family, counter in (("NodePath_scaling", "bytes_per_second"),
                            ("NodePath_hand_split_scaling", "bytes_per_second"),
                            ("ObjectPath_scaling", "bytes_per_second"),
                            ("ObjectPath_hand_split_scaling", "bytes_per_second"),
                            ("ObjectPath_append", "items_per_second")):
        rates = {n.split("/")[1]: b[counter] for n, b in m.items() if n.startswith(family + "/")}
        if len(rates) >= 2:
            r = max(rates.values()) / min(rates.values())
            what = "code unit" if counter == "bytes_per_second" else "element"
            # A cost that grows with the input would show as a spread of orders
            # of magnitude; a flat curve stays within cache effects.
            row(f"{family}: time per {what}, 10 to 100,000", f"{r:.2f}x spread", ", ".join(f"{n}: {v / 1e6:.0f}M/s" for n, v in sorted(
                    rates.items(), key=lambda kv: int(kv[0]))))

    for k in ("NodePath_kernel", "NodePath_hand_split", "NodePath_std_filesystem",
              "NodePath_boost_filesystem", "ObjectPath_kernel", "ObjectPath_json_pointer"):
        if have(k) and "allocs_per_path" in m[k]:
            row(f"memory: {k}", f"{m[k]['allocs_per_path']:.2f} allocations, "
                f"{m[k]['bytes_per_path']:.0f} bytes per path")

    width = max(len(r["measure"]) for r in rows)
    vwidth = max(len(r["value"]) for r in rows)
    print(f"Machine: {context.get('num_cpus')} x {context.get('mhz_per_cpu')} MHz, "
          f"{platform.platform()}; {context.get('library_build_type')} benchmark library")
    print(f"{'measure'.ljust(width)}  {'measured'.ljust(vwidth)}  detail")
    for r in rows:
        print(f"{r['measure'].ljust(width)}  {r['value'].ljust(vwidth)}  {r['detail']}".rstrip())
    if len(sys.argv) > 2:
        with open(sys.argv[2], "w") as f:
            json.dump({"context": context, "rows": rows}, f, indent=2)


if __name__ == "__main__":
    main()
