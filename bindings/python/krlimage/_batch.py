"""Effects on files and folders of pictures, by the rules of the command line."""

from __future__ import annotations

import os
import sys
import uuid
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
MODES_OF_RGB = ("RGB", "RGBA", "P", "PA")
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


def batch(files: PathLike | Iterable[PathLike], look: AnyLook, out: PathLike | None = None, jobs: int | None = None, *,
          format: str | None = None, quality: int = 90, recursive: bool = False, in_place: bool = False,
          progress: bool | None = None) -> BatchResult:
    """Runs a look on pictures in files. Failures are skipped, and each result appears whole or not at all.

    Parameters
    ----------
    files : path or iterable of paths
        Pictures, and folders whose pictures are taken.
    look : str, sequence of str or callable
        Calls such as ``"vignette(blur: 160)"``, a `Look`, or a function from an RGBA array to an array.
    out : path, optional
        A folder, which is made; or for one picture a file. Left out with ``in_place``.
    jobs : int, optional
        Pictures processed in parallel; left out, one for each processor.
    format : str, optional
        ``"png"``, ``"jpg"``, ``"tif"`` or ``"webp"``; left out, that of each picture.
    quality : int, default 90
        Of JPEG and WebP. Try 1 to 100.
    recursive : bool, default False
        Also takes the pictures in folders within folders; `out` gets the same folders.
    in_place : bool, default False
        Lets a result replace its picture.
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
        If it is not clear where the results go, or one would replace a picture without ``in_place``.

    Notes
    -----
    Colour profile, EXIF, XMP and resolution are preserved, EXIF orientation is applied. JPEG has no
    transparency: pictures are laid on white. Files with several pages or frames are failures.

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
    plan = _plan(files, out, format, recursive, in_place)

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


def _plan(files: PathLike | Iterable[PathLike], out: PathLike | None, format: str | None, recursive: bool,
          in_place: bool) -> List[Tuple[Path, Path]]:
    """Each picture with its output."""
    given = [Path(files)] if isinstance(files, (str, os.PathLike)) else [Path(file) for file in files]
    found = [item for file in given for item in (_pictures_in(file, recursive) if file.is_dir() else [(file, Path())])]
    if not found:
        raise ValueError("files: expected a picture or a folder, got none")
    several = len(given) > 1 or given[0].is_dir()
    plan = _in_place(found, in_place, format) if out is None else _targets(found, several, out, format)
    _refuse_shared_outputs(plan)
    if not in_place:
        _refuse_lost_pictures(plan)
    if out is not None and (several or _names_folder(out)):
        for folder in {target.parent for _, target in plan}:
            folder.mkdir(parents=True, exist_ok=True)
    return plan


def _in_place(found: List[Tuple[Path, Path]], in_place: bool, format: str | None) -> List[Tuple[Path, Path]]:
    if not in_place:
        raise ValueError("out: expected a folder or a file; in_place=True rewrites the pictures themselves")
    if format is not None:
        raise ValueError("format: expected none without out: pictures in place keep their names")
    return [(source, source) for source, _ in found]


def _targets(found: List[Tuple[Path, Path]], several: bool, out: PathLike, format: str | None) -> List[Tuple[Path, Path]]:
    """One file, or names in a folder."""
    target = Path(out)
    if not several and not _names_folder(out):
        return [(found[0][0], target)]
    if target.is_file() or several and not _names_folder(out) and target.suffix.lower() in EXTENSIONS:
        raise ValueError(f"out: {target} is or names a file, but several pictures need a folder")
    return [(source, target / within / _name_of(source, format)) for source, within in found]


def _names_folder(out: PathLike) -> bool:
    return not Path(out).suffix or str(out).endswith(("/", os.sep)) or Path(out).is_dir()


def _refuse_shared_outputs(plan: List[Tuple[Path, Path]]) -> None:
    writers: Dict[Path, Path] = {}
    for source, target in plan:
        first = writers.setdefault(target, source)
        if first is not source:
            raise ValueError(f"{first} and {source} would both be written to {target}")


def _refuse_lost_pictures(plan: List[Tuple[Path, Path]]) -> None:
    pictures = {source.resolve(): source for source, _ in plan if source.is_file()}
    for _, target in plan:
        lost = pictures.get(target.resolve())
        if lost is not None:
            raise ValueError(f"out: {lost} would be overwritten; name another output, or pass in_place=True")


def _pictures_in(folder: Path, recursive: bool) -> List[Tuple[Path, Path]]:
    """Pictures, and where in the folder they are."""
    found = sorted(path for path in folder.glob("**/*" if recursive else "*")
                   if path.suffix.lower() in EXTENSIONS and not path.name.startswith(".") and path.is_file())
    if not found:
        raise ValueError(f"files: no pictures found in {folder}")
    return [(path, path.relative_to(folder).parent) for path in found]


def _name_of(source: Path, format: str | None) -> str:
    if format is None:
        return source.name
    # Text after a dot is part of the name unless it is a picture's extension.
    return f"{source.stem if source.suffix.lower() in EXTENSIONS else source.name}.{format}"


def _process(source: Path, target: Path, work: Callable[[Array], Any], quality: int) -> None:
    from PIL import Image  # type: ignore[import]

    kind = FORMATS.get(target.suffix[1:].lower())
    if kind is None:
        raise ValueError(f"cannot write {target}: its name must end in {', '.join(EXTENSIONS)}")
    picture, kept = _read(source)
    made = Image.fromarray(as_array(work(picture), "the look's result")).convert("RGBA")
    if made.getextrema()[3][0] == 255:
        made = made.convert("RGB")
    elif kind == "JPEG":
        made = _on_white(made)
    if kind in ("JPEG", "WEBP"):
        kept["quality"] = quality
    _write_whole(made, source, target, kind, kept)


def _read(source: Path) -> Tuple[Array, Dict[str, Any]]:
    """The picture in RGBA, and the metadata to write again."""
    from PIL import Image, ImageOps, UnidentifiedImageError

    try:
        with Image.open(source) as file:
            _refuse_frames(file)
            image = ImageOps.exif_transpose(file)
            return np.asarray(Image.fromarray(as_array(image)).convert("RGBA")), _metadata(file, image)
    except UnidentifiedImageError:
        raise ValueError("unrecognised picture format") from None


def _refuse_frames(file: Any) -> None:
    """Only the first would be left. The further pictures of a camera's JPEG are previews."""
    frames = getattr(file, "n_frames", 1)
    if frames > 1 and file.format != "MPO":
        raise ValueError(f"has {frames} pages or frames, of which batch would keep one; krlimage apply keeps all")


def _metadata(file: Any, upright: Any) -> Dict[str, Any]:
    """What is written again; a profile for grey or ink does not fit the result, which is RGB."""
    keys = ("icc_profile", "dpi", "xmp") if file.mode in MODES_OF_RGB else ("dpi", "xmp")
    kept = {key: file.info[key] for key in keys if file.info.get(key)}
    exif = upright.getexif()
    if len(exif):
        kept["exif"] = exif.tobytes()
    return kept


def _on_white(image: Any) -> Any:
    from PIL import Image

    white = Image.new("RGBA", image.size, "white")
    return Image.alpha_composite(white, image).convert("RGB")


def _write_whole(image: Any, source: Path, target: Path, kind: str, options: Dict[str, Any]) -> None:
    """Writes beside the target and renames, so that a file is never seen half-written.

    A file that is replaced keeps its permissions; of a new one, nobody is let in whom the picture keeps out.
    """
    permissions = source.stat().st_mode & 0o666 | 0o600
    unfinished = target.with_name(f".{target.name}.{uuid.uuid4().hex[:8]}")
    try:
        with open(unfinished, "xb", opener=lambda path, flags: os.open(path, flags, permissions)) as file:
            if target.is_file():
                os.chmod(unfinished, target.stat().st_mode & 0o777)
            image.save(file, kind, **options)
        os.replace(unfinished, target)
    except BaseException:
        unfinished.unlink(missing_ok=True)
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
