"""Looks on files: whole results, failures skipped, a summary."""

import os
import stat
import sys

import krlimage
import numpy as np
import pytest
from PIL import Image


@pytest.fixture
def folder(tmp_path, picture):
    place = tmp_path / "in"
    place.mkdir()
    for name in ("b.png", "a.png"):
        Image.fromarray(picture).save(place / name)
    (place / ".hidden.png").write_bytes(b"")
    (place / "notes.txt").write_text("no picture")
    return place


def read(path):
    with Image.open(path) as image:
        return np.asarray(image)


@pytest.mark.parametrize("look", [
    "sepia", ["brightness(0)", "sepia"], krlimage.sepia, lambda picture: Image.fromarray(krlimage.sepia(picture)),
], ids=["call", "calls", "function", "image"])
def test_a_folder_is_graded(folder, tmp_path, picture, look):
    result = krlimage.batch(folder, look, tmp_path / "out", jobs=2)
    assert result.ok and str(result) == "2 of 2 pictures done"
    assert result.done == {folder / name: tmp_path / "out" / name for name in ("a.png", "b.png")}
    assert sorted(os.listdir(tmp_path / "out")) == ["a.png", "b.png"]
    np.testing.assert_array_equal(read(tmp_path / "out/a.png"), krlimage.sepia(picture)[..., :3])


def test_it_does_what_the_command_line_does(folder, tmp_path, picture, command):
    """The same files with the same pixels, past a broken one; both name it."""
    picture[:9, :, 3] = 40
    Image.fromarray(picture).save(folder / "clear.png")
    Image.fromarray(picture).convert("L").save(folder / "grey.png")
    (folder / "broken.png").write_bytes(b"no picture at all")
    calls = ["colourTemperature(4200.0)", "vignette(blur: 25%, mix: 0.5)"]
    done = command("apply", folder, "-o", tmp_path / "expected", *calls)
    assert done.returncode != 0 and "broken.png" in done.stderr
    result = krlimage.batch(folder, calls, tmp_path / "out")
    assert list(result.failed) == [folder / "broken.png"]
    assert sorted(os.listdir(tmp_path / "out")) == ["a.png", "b.png", "clear.png", "grey.png"]
    assert sorted(os.listdir(tmp_path / "expected")) == sorted(os.listdir(tmp_path / "out"))
    for made in (tmp_path / "out").iterdir():
        np.testing.assert_array_equal(read(made), read(tmp_path / "expected" / made.name))


def test_failures_are_skipped_and_leave_nothing(folder, tmp_path):
    (folder / "broken.png").write_bytes(b"no picture at all")
    (folder / "cut.png").write_bytes((folder / "a.png").read_bytes()[:2000])
    result = krlimage.batch([folder, tmp_path / "missing.png"], "sepia", tmp_path / "out")
    assert not result.ok and str(result).startswith("2 of 5 pictures done, 3 failed\n")
    assert set(result.failed) == {folder / "broken.png", folder / "cut.png", tmp_path / "missing.png"}
    assert result.failed[folder / "broken.png"] == "unrecognised picture format"
    assert "truncated" in result.failed[folder / "cut.png"]
    assert "No such file" in result.failed[tmp_path / "missing.png"]
    assert sorted(os.listdir(tmp_path / "out")) == ["a.png", "b.png"]


def test_a_failed_write_keeps_the_old_file(folder, tmp_path):
    out = tmp_path / "out"
    out.mkdir()
    (out / "a.png").write_bytes(b"old")

    def failing(picture):
        raise RuntimeError("no more")

    result = krlimage.batch(folder / "a.png", failing, out)
    assert result.failed == {folder / "a.png": "no more"} and (out / "a.png").read_bytes() == b"old"
    assert os.listdir(out) == ["a.png"]


@pytest.mark.parametrize("look, words", [
    ("brightnes(4)", "no method is called brightnes"), ("brightness(1.5)", "expected an integer"),
    (["sepia", "brightness("], "brightness"), ("composite", "foreground"),
])
def test_a_wrong_call_is_reported_before_anything(folder, tmp_path, look, words):
    with pytest.raises(krlimage.KrlError, match=words):
        krlimage.batch(folder, look, tmp_path / "out")
    assert not (tmp_path / "out").exists()


@pytest.mark.parametrize("files, out, words", [
    (lambda f: [], "out", "got none"),
    (lambda f: f, "out.png", "several pictures need a folder"),
    (lambda f: f, "in/notes.txt", "several pictures need a folder"),
    (lambda f: [f, f / "a.png"], "out", "would both be written"),
    (lambda f: f.parent, "out", "no pictures found"),
    (lambda f: f, "in", "a.png would be overwritten; name another output, or pass in_place=True"),
    (lambda f: f / "a.png", "in/../in/a.png", "a.png would be overwritten"),
    (lambda f: f / "a.png", "in/", "a.png would be overwritten"),
])
def test_where_results_go_must_be_clear(folder, tmp_path, files, out, words):
    before = {path: path.read_bytes() for path in folder.iterdir()}
    with pytest.raises(ValueError, match=words):
        krlimage.batch(files(folder), "sepia", tmp_path / out)
    assert {path: path.read_bytes() for path in folder.iterdir()} == before


def test_pictures_are_rewritten_when_asked_for(folder, tmp_path, picture):
    for out in (None, folder):
        result = krlimage.batch(folder, "invert", out, in_place=True)
        assert result.done == {folder / name: folder / name for name in ("a.png", "b.png")}
        np.testing.assert_array_equal(read(folder / "a.png"), (krlimage.invert(picture) if out is None else picture)[..., :3])
    with pytest.raises(ValueError, match="out: expected a folder or a file; in_place=True rewrites"):
        krlimage.batch(folder, "invert")
    with pytest.raises(ValueError, match="format: expected none without out"):
        krlimage.batch(folder, "invert", in_place=True, format="jpg")


def test_folders_within_folders_are_mirrored(folder, tmp_path, picture):
    (folder / "deeper").mkdir()
    Image.fromarray(picture).save(folder / "deeper/a.png")
    krlimage.batch(folder, "sepia", tmp_path / "flat")
    assert sorted(os.listdir(tmp_path / "flat")) == ["a.png", "b.png"]
    assert krlimage.batch(folder, "sepia", tmp_path / "out", recursive=True).ok
    assert (read(tmp_path / "out/deeper/a.png") == read(tmp_path / "out/a.png")).all()
    assert sorted(os.listdir(tmp_path / "out")) == ["a.png", "b.png", "deeper"]


def test_formats_follow_the_name_or_the_choice(folder, tmp_path, picture):
    picture[:8, :, 3] = 0
    Image.fromarray(picture).save(folder / "b.png")
    krlimage.batch(folder, "sepia", tmp_path / "out", format="jpg", quality=95)
    assert sorted(os.listdir(tmp_path / "out")) == ["a.jpg", "b.jpg"]
    made = read(tmp_path / "out/b.jpg")
    assert made.shape == (48, 64, 3) and made[:7].min() > 230, "transparent on white"
    krlimage.batch(folder / "a.png", "sepia", tmp_path / "one.webp")
    with Image.open(tmp_path / "one.webp") as image:
        assert image.format == "WEBP"
    with pytest.raises(ValueError, match="format: expected one of"):
        krlimage.batch(folder, "sepia", tmp_path / "out", format="bmp")
    assert "must end in" in str(krlimage.batch(folder / "a.png", "sepia", tmp_path / "one.bmp"))


def test_metadata_stays_and_orientation_is_applied(tmp_path, picture):
    image = Image.fromarray(picture[..., :3])
    exif = image.getexif()
    exif[0x0112], exif[0x010F] = 6, "a camera"  # turned by a quarter; the maker
    image.save(tmp_path / "a.jpg", exif=exif, dpi=(300, 300), icc_profile=b"a profile", quality=100)
    krlimage.batch(tmp_path / "a.jpg", "brightness(0)", tmp_path / "b.jpg")
    with Image.open(tmp_path / "b.jpg") as made:
        assert made.size == (48, 64) and made.info["dpi"] == (300, 300) and made.info["icc_profile"] == b"a profile"
        assert made.getexif().get(0x010F) == "a camera" and 0x0112 not in made.getexif()


def test_a_profile_that_does_not_fit_the_result_is_dropped(tmp_path, picture):
    for mode, kept in (("RGB", b"a profile"), ("CMYK", None), ("L", None)):
        Image.fromarray(picture[..., :3]).convert(mode).save(tmp_path / "a.jpg", icc_profile=b"a profile")
        assert krlimage.batch(tmp_path / "a.jpg", "sepia", tmp_path / "b.jpg").ok
        with Image.open(tmp_path / "b.jpg") as made:
            assert made.mode == "RGB" and made.info.get("icc_profile") == kept, mode


def test_pages_are_not_lost_in_silence(tmp_path, picture):
    page = Image.fromarray(picture)
    page.save(tmp_path / "two.tif", save_all=True, append_images=[page])
    result = krlimage.batch(tmp_path / "two.tif", "sepia", tmp_path / "out.tif")
    assert result.failed[tmp_path / "two.tif"].startswith("has 2 pages or frames, of which batch would keep one; ")
    assert not (tmp_path / "out.tif").exists()


def rights(path):
    return stat.S_IMODE(path.stat().st_mode)


def test_who_cannot_read_a_picture_cannot_read_its_result(folder, tmp_path):
    """New files follow the umask, which other threads of the process keep, and the picture's own permissions."""
    umask = os.umask(0o027)
    try:
        (folder / "b.png").chmod(0o600)
        krlimage.batch(folder, "sepia", tmp_path / "out", jobs=4)
        assert os.umask(0o027) == 0o027
        assert rights(tmp_path / "out/a.png") == 0o640 and rights(tmp_path / "out/b.png") == 0o600
        (tmp_path / "out/b.png").chmod(0o644)
        krlimage.batch(folder, "sepia", tmp_path / "out")
        assert rights(tmp_path / "out/b.png") == 0o644, "a file that is replaced keeps its own"
    finally:
        os.umask(umask)


def test_sixteen_bits_become_eight(tmp_path):
    grey = (np.arange(64 * 48, dtype=np.uint16) * 21).reshape(48, 64)
    Image.fromarray(grey).save(tmp_path / "a.png")
    krlimage.batch(tmp_path / "a.png", "brightness(0)", tmp_path / "b.png")
    np.testing.assert_array_equal(read(tmp_path / "b.png")[..., 0], grey >> 8)


def test_a_bar_is_shown_when_asked_for(folder, tmp_path, capfd):
    pytest.importorskip("tqdm")
    krlimage.batch(folder, "sepia", tmp_path / "out", progress=True)
    assert "2/2" in capfd.readouterr().err
    krlimage.batch(folder, "sepia", tmp_path / "out")
    assert capfd.readouterr().err == ""


def test_without_tqdm_there_is_no_bar_and_all_else_is_the_same(folder, tmp_path, capfd, monkeypatch):
    (folder / "broken.png").write_bytes(b"no picture at all")
    monkeypatch.setitem(sys.modules, "tqdm", None)
    result = krlimage.batch(folder, "sepia", tmp_path / "out", progress=True)
    assert str(result).startswith("2 of 3 pictures done, 1 failed\n") and capfd.readouterr().err == ""


def test_apply_runs_calls_as_the_command_line_does(picture):
    expected = krlimage.vignette(krlimage.colourTemperature(picture, 4200.0), blur=10)
    calls = "colourTemperature(4200.0)", "krlImageVignette(#blur: 10)"
    np.testing.assert_array_equal(krlimage.apply(picture, *calls), expected)
    np.testing.assert_array_equal(krlimage.apply(picture[..., :3], *calls), expected[..., :3])
    np.testing.assert_array_equal(krlimage.apply(picture), picture)
    assert krlimage.apply(picture, *calls, out=picture) is picture
    np.testing.assert_array_equal(picture, expected)
    np.testing.assert_array_equal(krlimage.apply(picture, "halfSize", "sepia"), krlimage.sepia(krlimage.halfSize(picture)))
    with pytest.raises(krlimage.KrlError) as caught:
        krlimage.apply(picture, "BRIGHTNESS(1.5)")
    assert (caught.value.method, caught.value.argument) == ("brightness", "brightnessInt")
    with pytest.raises(TypeError, match="calls: expected texts"):
        krlimage.apply(picture, 7)
    with pytest.raises(ValueError, match="new picture"):
        krlimage.apply(picture, "halfSize", out=picture)
