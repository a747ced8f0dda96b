"""Checks cluster/openjd/film.yaml and runs its tasks, as a farm would.

    open_job_test.py TEMPLATE TAVORA SCENE
"""
import re
import shlex
import subprocess
import sys
import tempfile
from pathlib import Path

import yaml

TEMPLATE, TAVORA, SCENE = (Path(argument).resolve() for argument in sys.argv[1:])

# What the template uses of version 2023-09 of the Open Job Description: the keys of each object,
# those with a * must be there, and a pattern for each value. A list holds objects alike.
NAME, TEXT, NUMBER = r"[A-Za-z_]\w{0,63}", r"(?s).+", r"-?\d+"
JOB = {
    "specificationVersion*": "jobtemplate-2023-09",
    "name*": r".{1,128}",
    "parameterDefinitions": [{
        "name*": NAME, "type*": "STRING|PATH|INT|FLOAT", "description": TEXT,
        "default": r"(?s).*", "minValue": NUMBER,
        "objectType": "FILE|DIRECTORY", "dataFlow": "NONE|IN|OUT|INOUT",
    }],
    "steps*": [{
        "name*": TEXT,
        "parameterSpace": {
            "taskParameterDefinitions*": [{"name*": NAME, "type*": "INT", "range*": TEXT}],
        },
        "script*": {
            "actions*": {"onRun*": {
                "command*": TEXT,
                "args": r"\['.+'\]",
                "cancelation": {"mode*": "NOTIFY_THEN_TERMINATE", "notifyPeriodInSeconds": r"[1-5]?\d?\d|600"},
            }},
            "embeddedFiles": [{"name*": NAME, "type*": "TEXT", "data*": TEXT}],
        },
    }],
}


def check(value, rule, place="template"):
    if isinstance(rule, str):
        assert re.fullmatch(rule, str(value)), f"{place}: not {value!r}"
    elif isinstance(rule, list):
        assert isinstance(value, list), f"{place}: must be a list"
        for i, each in enumerate(value):
            check(each, rule[0], f"{place}[{i}]")
    else:
        rules = {key.rstrip("*"): each for key, each in rule.items()}
        missing = {key[:-1] for key in rule if key.endswith("*")} - value.keys()
        assert not missing, f"{place}: without {missing}"
        for key, each in value.items():
            assert key in rules, f"{place}: {key} is unknown"
            check(each, rules[key], f"{place}.{key}")


def resolve(text, values):
    return re.sub(r"\{\{\s*([\w.]+)\s*\}\}", lambda match: str(values[match[1]]), text)


def run_tasks(template, parameters, folder):
    """Every task of the only step, each in turn; what each said and its exit status."""
    step = template["steps"][0]
    values = {f"Param.{each['name']}": each.get("default") for each in template["parameterDefinitions"]}
    values |= {f"Param.{name}": value for name, value in parameters.items()}
    chunk = step["parameterSpace"]["taskParameterDefinitions"][0]
    first, last, stride = map(int, re.fullmatch(r"(-?\d+)-(-?\d+):(\d+)", resolve(chunk["range"], values)).groups())
    for start in range(first, last + 1, stride):
        values[f"Task.Param.{chunk['name']}"] = start
        for file in step["script"]["embeddedFiles"]:
            path = folder / file["name"]
            path.write_text(resolve(file["data"], values))
            values[f"Task.File.{file['name']}"] = path
        action = step["script"]["actions"]["onRun"]
        command = [resolve(part, values) for part in [action["command"], *action["args"]]]
        ended = subprocess.run(command, capture_output=True, text=True, timeout=60)
        yield ended.stdout, ended.returncode


template = yaml.safe_load(TEMPLATE.read_text())
check(template, JOB)
with tempfile.TemporaryDirectory() as name:
    folder = Path(name)
    options = "-r 64x36 -s 4 --fps 6"
    subprocess.run([TAVORA, "render", SCENE, "-o", folder / "one-##.png", "-f", "1-7", "--quiet", *shlex.split(options)], check=True)
    parameters = {"Scene": SCENE, "Output": folder / "a film" / "##.png", "Tavora": TAVORA,
                  "FirstFrame": 1, "LastFrame": 7, "FramesATask": 3, "Options": options}
    tasks = list(run_tasks(template, parameters, folder))
    assert [status for _, status in tasks] == [0, 0, 0], tasks
    for (said, _), count in zip(tasks, [3, 3, 1]):
        assert re.search(r"^openjd_progress: 100", said, re.MULTILINE), said
        assert f"tavora: {count} frames rendered" in said, said
    frames = {each.name: each.read_bytes() for each in (folder / "a film").iterdir()}
    assert frames == {f"{i:02}.png": (folder / f"one-{i:02}.png").read_bytes() for i in range(1, 8)}, sorted(frames)

    # Started again, each leaves out what is there. A frame that fails fails its task alone, after
    # the others of it.
    (folder / "a film" / "02.png").unlink()
    (folder / "a film" / "02.png").mkdir()
    (folder / "a film" / "03.png").unlink()
    again = list(run_tasks(template, parameters, folder))
    assert [status for _, status in again] == [5, 0, 0]
    assert "3 there already" in again[1][0], again
    assert (folder / "a film" / "03.png").is_file()
