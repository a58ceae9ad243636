"""Effects on files and folders of pictures, by the rules of the command line."""

from __future__ import annotations

import os
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass
from pathlib import Path
from typing import Any, Callable, Dict, Iterable, Iterator, List, Sequence, Tuple, Union

import numpy as np

from ._calls import apply, work_on_one_thread
from ._errors import KrlError
from ._pictures import as_array
from ._types import Array

PathLike = Union[str, "os.PathLike[str]"]
AnyLook = Union[str, Sequence[str], Callable[[Array], Any]]

EXTENSIONS = (".png", ".jpg", ".jpeg", ".tif", ".tiff", ".webp")
FORMATS = {"png": "PNG", "jpg": "JPEG", "jpeg": "JPEG", "tif": "TIFF", "tiff": "TIFF", "webp": "WEBP"}


@dataclass(frozen=True)
class BatchResult:
    """What became of a batch.

    Attributes
    ----------
    done : dict of Path to Path
        The pictures that were written: from which file, to which.
    failed : dict of Path to str
        Those that were not, and why.
    """

    done: Dict[Path, Path]
    failed: Dict[Path, str]

    @property
    def ok(self) -> bool:
        """Whether every picture was written."""
        return not self.failed

    def __str__(self) -> str:
        count = len(self.done) + len(self.failed)
        text = f"{len(self.done)} of {count} picture{'' if count == 1 else 's'} done"
        if self.failed:
            text += f", {len(self.failed)} failed"
        return "\n".join([text, *(f"{path}: {why}" for path, why in self.failed.items())])


def batch(files: PathLike | Iterable[PathLike], look: AnyLook, out: PathLike, jobs: int | None = None, *,
          format: str | None = None, quality: int = 90, progress: bool | None = None) -> BatchResult:
    """Runs a look on pictures in files. Failures are skipped, and each result appears whole or not at all.

    Parameters
    ----------
    files : path or iterable of paths
        Pictures, and folders whose pictures are taken.
    look : str, sequence of str or callable
        Calls such as ``"vignette(blur: 160)"``, a `Look`, or a function from an RGBA array to an array.
    out : path
        A folder, which is made; or for one picture a file.
    jobs : int, optional
        Pictures processed in parallel; left out, one for each processor.
    format : str, optional
        ``"png"``, ``"jpg"``, ``"tif"`` or ``"webp"``; left out, that of each picture.
    quality : int, default 90
        Of JPEG and WebP. Try 1 to 100.
    progress : bool, optional
        Whether to show a bar of `tqdm`; left out, on a terminal where that is installed.

    Returns
    -------
    BatchResult
        What was written and what failed.

    Raises
    ------
    KrlError
        If a call of the look is wrong, before any picture is read.
    ValueError
        If it is not clear where the results go.

    Notes
    -----
    Colour profile, EXIF, XMP and resolution are preserved, EXIF orientation is applied. JPEG has no
    transparency: pictures are laid on white.

    Examples
    --------
    >>> import krlimage, pathlib, tempfile
    >>> from PIL import Image
    >>> folder = pathlib.Path(tempfile.mkdtemp())
    >>> Image.fromarray(krlimage.sample()).save(folder / "a.png")
    >>> print(krlimage.batch(folder / "a.png", "sepia", folder / "graded"))
    1 of 1 picture done
    """
    if format is not None and format.lower() not in FORMATS:
        raise ValueError(f"format: expected one of {', '.join(FORMATS)}, got {format!r:.200}")
    work = _function_of(look)
    plan = _plan(files, out, format)

    def process(item: Tuple[Path, Path]) -> str:
        try:
            _process(*item, work, quality)
            return ""
        except Exception as error:  # what ends one picture must not end the others
            return f"{type(error).__name__}: {error}" if not str(error) else str(error)

    with ThreadPoolExecutor(jobs or os.cpu_count(), initializer=work_on_one_thread) as pool:
        problems = list(_with_bar(pool.map(process, plan), len(plan), progress))
    return BatchResult({source: target for (source, target), why in zip(plan, problems) if not why},
                       {source: why for (source, _), why in zip(plan, problems) if why})


def _function_of(look: AnyLook) -> Callable[[Array], Any]:
    """The look as a function; calls that are wrong for any picture are refused here."""
    if callable(look):
        return look
    calls = [look] if isinstance(look, str) else list(look)
    for call in calls:
        try:
            apply(np.zeros((16, 16, 4), np.uint8), call)
        except KrlError as error:
            if not error.text or error.argument:
                raise
    return lambda picture: apply(picture, *calls, out=None)


def _plan(files: PathLike | Iterable[PathLike], out: PathLike, format: str | None) -> List[Tuple[Path, Path]]:
    """Each picture with its output."""
    given = [Path(files)] if isinstance(files, (str, os.PathLike)) else [Path(file) for file in files]
    sources = [picture for file in given for picture in (_pictures_in(file) if file.is_dir() else [file])]
    if not sources:
        raise ValueError("files: expected a picture or a folder, got none")
    target = Path(out)
    several = len(given) > 1 or given[0].is_dir()
    names_folder = not target.suffix or str(out).endswith(("/", os.sep)) or target.is_dir()
    if not several and not names_folder:
        return [(sources[0], target)]
    if target.is_file() or several and not names_folder and target.suffix.lower() in EXTENSIONS:
        raise ValueError(f"out: {target} is or names a file, but several pictures need a folder")
    target.mkdir(parents=True, exist_ok=True)
    plan = [(source, target / _name_in(source, format)) for source in sources]
    writers: Dict[Path, Path] = {}
    for source, result in plan:
        first = writers.setdefault(result, source)
        if first is not source:
            raise ValueError(f"{first} and {source} would both be written to {result}")
    return plan


def _pictures_in(folder: Path) -> List[Path]:
    found = sorted(path for path in folder.iterdir()
                   if path.suffix.lower() in EXTENSIONS and not path.name.startswith(".") and path.is_file())
    if not found:
        raise ValueError(f"files: no pictures found in {folder}")
    return found


def _name_in(source: Path, format: str | None) -> str:
    if format is None:
        return source.name
    # Text after a dot is part of the name unless it is a picture's extension.
    return f"{source.stem if source.suffix.lower() in EXTENSIONS else source.name}.{format}"


def _process(source: Path, target: Path, work: Callable[[Array], Any], quality: int) -> None:
    from PIL import Image, ImageOps  # type: ignore[import]

    kind = FORMATS.get(target.suffix[1:].lower())
    if kind is None:
        raise ValueError(f"cannot write {target}: its name must end in {', '.join(EXTENSIONS)}")
    with Image.open(source) as file:
        image = ImageOps.exif_transpose(file)
        kept = {key: file.info[key] for key in ("icc_profile", "dpi", "xmp") if file.info.get(key)}
        exif = image.getexif()
        if len(exif):
            kept["exif"] = exif.tobytes()
        picture = np.asarray(Image.fromarray(as_array(image)).convert("RGBA"))
    made = Image.fromarray(as_array(work(picture), "the look's result"))
    if kind == "JPEG":
        made = _on_white(made.convert("RGBA"))
    if kind in ("JPEG", "WEBP"):
        kept["quality"] = quality
    _write_whole(made, target, kind, kept)


def _on_white(image: Any) -> Any:
    from PIL import Image

    white = Image.new("RGBA", image.size, "white")
    return Image.alpha_composite(white, image).convert("RGB")


def _write_whole(image: Any, target: Path, kind: str, options: Dict[str, Any]) -> None:
    """Writes beside the target and renames, so that a file is never seen half-written."""
    handle, name = tempfile.mkstemp(prefix=f".{target.name}.", dir=target.parent)
    try:
        with os.fdopen(handle, "wb") as file:
            image.save(file, kind, **options)
        umask = os.umask(0)
        os.umask(umask)
        os.chmod(name, 0o666 & ~umask)
        os.replace(name, target)
    except BaseException:
        os.unlink(name)
        raise


def _with_bar(results: Iterator[str], count: int, wanted: bool | None) -> Iterable[str]:
    if wanted is None and not sys.stderr.isatty() or wanted is False:
        return results
    try:
        from tqdm import tqdm  # type: ignore[import]
    except ImportError:
        return results
    bar: Iterable[str] = tqdm(results, total=count, unit="picture")
    return bar
