#!/usr/bin/env python3
"""Runs pktaus-bench and its peers in turn and prints one table: bench.py BUILD_FOLDER [ROW...].

Times are CPU times (user and system) of whole processes. A ratio is the median of the ratios of runs that followed each
other; a peak is the largest resident size. Inputs and outputs lie in a folder in memory.
"""
import os
import shutil
import statistics
import subprocess
import sys
import tempfile

from make_inputs import make, reserved


class Run:
    """One process: CPU seconds and, of ours, peak in bytes."""

    def __init__(self, command):
        quiet, errors = os.open(os.devnull, os.O_WRONLY), os.memfd_create("errors")
        actions = [(os.POSIX_SPAWN_DUP2, quiet, 1), (os.POSIX_SPAWN_DUP2, errors, 2)]
        _, status, usage = os.wait4(os.posix_spawnp(command[0], command, os.environ, file_actions=actions), 0)
        said = os.pread(errors, 4096, 0).decode(errors="replace")
        os.close(quiet)
        os.close(errors)
        if status != 0:
            raise RuntimeError("failed: " + " ".join(command))
        self.seconds = usage.ru_utime + usage.ru_stime
        # In its own words: what the system tells of a child counts this program's memory in.
        self.peak = int(said.rpartition("peak=")[2]) * 1024 if "peak=" in said else None


class Bench:
    def __init__(self, build, out):
        self.bin, self.inputs, self.out = os.path.abspath(build + "/bin"), build + "/inputs", out

    def input(self, name):
        path = self.path(name)
        if not os.path.exists(path):
            shutil.copyfile(make(self.inputs, name), path)
        return path

    def path(self, name):
        return os.path.join(self.out, name)

    def ours(self, *arguments):
        return lambda: Run([os.path.join(self.bin, "pktaus-bench"), *arguments])

    def peer(self, name, *arguments):
        return lambda: Run([os.path.join(self.bin, "peer_" + name), *arguments])

    def fresh_copy(self, name):
        target = self.path("table.dbf")
        shutil.copyfile(self.input(name), target)
        return target


def in_turn(first, second, rounds):
    """Runs both `rounds` times, in turn, and gives their results as two lists."""
    results = ([], [])
    for n in range(rounds + 1):  # the first round warms caches
        order = (0, 1) if n % 2 else (1, 0)
        for which in order:
            run = (first, second)[which]()
            if n > 0:
                results[which].append(run)
    return results


def seconds(runs):
    return statistics.median(run.seconds for run in runs)


def ratio(runs, others):
    return statistics.median(run.seconds / other.seconds for run, other in zip(runs, others))


def peak(runs):
    return max(run.peak for run in runs)


def row(what, figure, bar, note):
    """One line of the table. A bar of None means that the figure is only reported."""
    verdict = "" if bar is None else ("ok" if figure <= bar else "OVER")
    text = "" if figure is None else f"{figure:.2f}"
    print(f"{what:<52}{text:>8}{'' if bar is None else f'{bar:.2f}':>7} {verdict:<5} {note}", flush=True)


def against(what, ours, peer, bar, rounds):
    mine, others = in_turn(ours, peer, rounds)
    row(what, ratio(mine, others), bar, f"{seconds(mine):.3f} s against {seconds(others):.3f} s")
    return mine


def growth(what, small, large, bar, rounds):
    few, many = in_turn(small, large, rounds)
    row(what, ratio(many, few), bar, f"{seconds(few):.3f} s and {seconds(many):.3f} s")
    return many


def xml(bench, name, bar, rounds):
    out = bench.path("out.xml")
    source = bench.input(name)
    return against(f"xml {name}, CPU to pugixml", bench.ours("xml", source, out), bench.peer("pugixml", "xml", source, out),
                   bar, rounds)


def row_xml(bench):
    runs = xml(bench, "100.xml", 1.0, 9)
    size = os.path.getsize(bench.input("100.xml"))
    row("xml 100.xml, peak to file", peak(runs) / size, 2.4, f"{peak(runs) / 1e6:.0f} MB for {size / 1e6:.0f} MB")
    out = bench.path("out.xml")
    growth("xml 10 to 100 MB", bench.ours("xml", bench.input("10.xml"), out),
           bench.ours("xml", bench.input("100.xml"), out), 11, 7)


def row_xml_lf(bench):
    xml(bench, "100lf.xml", 1.2, 9)


def row_xml_names(bench):
    xml(bench, "names.xml", 11, 15)


def row_xml_values(bench):
    xml(bench, "values.xml", 1.8, 9)


def copy(bench):
    """cp of the extended table, to a name that is free."""
    source, target = bench.path("after.dbf"), bench.path("copy.dbf")

    def run():
        if os.path.exists(target):
            os.remove(target)
        return Run(["cp", source, target])

    return run


def extend(bench, name):
    return lambda: bench.ours("dbf", bench.fresh_copy(name))()


def make_extended(bench):
    """The extended table as schema_extend itself makes it."""
    extend(bench, "plain.dbf")()
    os.replace(bench.path("table.dbf"), bench.path("after.dbf"))


def row_dbf_first(bench):
    make_extended(bench)
    runs = against("schema_extend, first run, CPU to cp", extend(bench, "plain.dbf"), copy(bench), 2.0, 9)
    size = os.path.getsize(bench.input("plain.dbf"))
    row("schema_extend, first run, peak to input", peak(runs) / size, 1.5, f"{peak(runs) / 1e6:.0f} MB")


def row_dbf_later(bench):
    make_extended(bench)
    later = bench.path("later.dbf")
    shutil.copyfile(bench.path("after.dbf"), later)
    runs = against("schema_extend, later runs, CPU to cp", bench.ours("dbf", later), copy(bench), 3.2, 9)
    size = os.path.getsize(later)
    row("schema_extend, later runs, peak to input", peak(runs) / size, 1.5, f"{peak(runs) / 1e6:.0f} MB")


def row_batch(bench):
    template, out = bench.input("template.xml"), bench.path("out.xml")
    mine = bench.ours("batch", template, "100000", out)
    against("batch of 100,000 points, CPU to pugixml", mine, bench.peer("pugixml", "batch", template, "100000", out), 0.9, 9)
    growth("batch, 10,000 to 100,000 points", bench.ours("batch", template, "10000", out), mine, 11, 7)


def row_ini(bench):
    source, out = bench.input("10.ini"), bench.path("out.ini")
    mine = bench.ours("ini", source, out)
    against("ini of 10 MB, CPU to GKeyFile", mine, bench.peer("glib", source, out), 1.0, 15)
    growth("ini, 1 to 10 MB", bench.ours("ini", bench.input("1.ini"), out), mine, 11, 15)


def row_catalog(bench):
    data = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "data")
    shipped = max((os.path.join(data, name) for name in os.listdir(data) if name.endswith(".ini")), key=os.path.getsize)
    against("largest shipped catalogue, CPU to GKeyFile", bench.ours("catalog", shipped), bench.peer("glib", shipped), 1.5,
            45)
    growth("catalogue, 100,000 to 1,000,000 values", bench.ours("catalog", bench.input("100k.cat")),
           bench.ours("catalog", bench.input("1m.cat")), 12, 7)


def row_reserved(bench):
    folder = bench.path("reserved")
    reserved(folder, 1000, 1000)
    files = [os.path.join(folder, name) for name in os.listdir(folder)]
    # Into a file: grep stops at the first hit where its output leads nowhere.
    found = bench.path("found.txt")
    grep = ["sh", "-c", f'exec grep -h reservierteNummern "$@" > {found}', "sh", *files]
    against("reserved numbers of 1,000 files, CPU to grep", bench.ours("reserved", folder), lambda: Run(grep), 3.0, 9)


def row_lookup(bench):
    table = bench.input("extended.dbf")
    few, many = [bench.ours("lookup", table, bench.input(names)) for names in ("1k.names", "100k.names")]
    for count, ours, names in (("1,000", few, "1k.names"), ("100,000", many, "100k.names")):
        against(f"{count} numbers among 1,000,000, CPU to a hash", ours, bench.peer("table", "lookup", table, bench.input(names)),
                3.0, 7)
    growth("the same, 1,000 to 100,000 numbers", few, many, 1.5, 7)


def row_walk(bench):
    table = bench.input("extended.dbf")
    against("walk over 1,000,000 records, CPU to a plain loop", bench.ours("walk", table), bench.peer("table", "walk", table), 3.0, 9)


def row_sheet(bench):
    ours = bench.ours("sheet", bench.input("extended.dbf"))
    command = [os.path.join(bench.bin, "pktaus-bench"), "sheet", bench.input("extended.dbf")]
    walks, _, _ = subprocess.run(command, capture_output=True, text=True, check=True).stdout.partition(" walks")
    row("point sheet on 1,000,000 points, walks", float(walks), 2.0, f"{seconds([ours() for _ in range(5)]):.3f} s")


def row_exportdialog(bench):
    growth("export dialog, 10,000 to 100,000 points", bench.ours("exportdialog", bench.input("10k.dbf")),
           bench.ours("exportdialog", bench.input("100k.dbf")), None, 7)


def grep(bench, options, file):
    """Through a pipe: grep stops at the first hit where its output leads nowhere."""
    return lambda: Run(["sh", "-c", f"grep {options} {bench.input(file)} | cat"])


def row_search(bench):
    with open(bench.input("1000.ids"), encoding="ascii") as file:
        ids = file.read().split()
    # Both meet the same identifiers in the same order, each round another.
    ours_next, grep_next = iter(ids), iter(ids)

    def ours():
        path = bench.path("one.ids")
        with open(path, "w", encoding="ascii") as one:
            print(next(ours_next), file=one)
        return bench.ours("search", bench.input("1000.nas"), path)()

    runs = against("a search in an original of 1 GB, CPU to grep -c", ours,
                   lambda: grep(bench, f"-c {next(grep_next)}", "1000.nas")(), 1.2, 9)
    row("the same, peak in MB", peak(runs) / 1e6, 16, "")


def row_searches(bench):
    ids = bench.input("1000.ids")
    runs = against("1,000 searches in it, CPU to grep -c -F -f", bench.ours("search", bench.input("1000.nas"), ids),
                   grep(bench, f"-c -F -f {ids}", "1000.nas"), 1.25, 5)
    size = os.path.getsize(bench.input("1000.nas"))
    row("the same, peak to file", peak(runs) / size, 0.1, f"{peak(runs) / 1e6:.0f} MB")


def row_orders(bench):
    for count, table in (("100", "few-orders.dbf"), ("20,000", "many-orders.dbf")):
        table = bench.input(table)
        against(f"{count} orders of 1,000,000 points, CPU to a hash", bench.ours("orders", table),
                bench.peer("table", "orders", table), 3.0, 5)


def row_export(bench):
    table, original, out = bench.input("order.dbf"), bench.input("100.nas"), bench.path("out.xml")
    ours = bench.ours("export", bench.bin, table, original, out)
    search = grep(bench, f"-F -f {bench.input('100.ids')}", "100.nas")
    tree = bench.peer("pugixml", "order", bench.input("template.xml"), "500", "250", "250", out)

    def both():
        result, second = search(), tree()
        result.seconds += second.seconds
        return result

    against("order of 1,000 points, CPU to grep and pugixml", ours, both, 1.25, 9)


def row_order_file(bench):
    out = bench.path("out.xml")
    mine = bench.ours("order", "100000", out)
    against("order of 100,000 new points, CPU to pugixml", mine,
            bench.peer("pugixml", "order", bench.input("template.xml"), "100000", "0", "0", out), 0.9, 9)
    growth("the same, 10,000 to 100,000 points", bench.ours("order", "10000", out), mine, 11, 7)


ROWS = {"xml": row_xml, "xml-lf": row_xml_lf, "xml-names": row_xml_names, "xml-values": row_xml_values,
        "dbf-first": row_dbf_first, "dbf-later": row_dbf_later, "batch": row_batch, "ini": row_ini, "catalog": row_catalog,
        "reserved": row_reserved, "lookup": row_lookup, "walk": row_walk, "sheet": row_sheet,
        "exportdialog": row_exportdialog, "search": row_search, "searches": row_searches, "orders": row_orders,
        "export": row_export, "order-file": row_order_file}


def main():
    wanted = sys.argv[2:] or list(ROWS)
    unknown = [name for name in wanted if name not in ROWS]
    if unknown:
        sys.exit(f"No such row: {' '.join(unknown)}. There are: {' '.join(ROWS)}")
    with tempfile.TemporaryDirectory(prefix="pktaus-bench-", dir="/dev/shm") as out:
        bench = Bench(sys.argv[1], out)
        print(f"{'':<52}{'figure':>8}{'bar':>7}")
        for name in wanted:
            try:
                ROWS[name](bench)
            except RuntimeError as failure:
                print(f"{name}: {failure}")


if __name__ == "__main__":
    main()
