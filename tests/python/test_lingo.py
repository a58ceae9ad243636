"""Scripts on pictures in memory."""

import krlimage
import numpy as np
import pytest

SEPIA = """
on main names
  picture = image(names[1])
  grader = new(xtra "KRLImageXtra")
  grader.krlImageCreateLookupTables(#mt)
  grader.krlImageLoad(picture)
  put grader.krlImageSepia()
  grader.krlImageQuit()
  grader.krlImageDestroyLookupTables()
  picture.save(names[2])
  alert("done")
end
"""


@pytest.mark.parametrize("order", ["RGB", "BGR"])
def test_a_script_gives_the_bytes_of_the_function(picture, order):
    before = picture.copy()
    result = krlimage.run_lingo(SEPIA, {"a.png": picture, "unused": picture[..., 0]}, ["a.png", "b.jpg"], order=order)
    assert result.output == "-- [#error: 0]\n" and "done" in result.alerts
    assert list(result.images) == ["b.jpg"]
    np.testing.assert_array_equal(result.images["b.jpg"], krlimage.sepia(picture, order=order))
    np.testing.assert_array_equal(picture, before)


def test_a_saved_picture_is_read_again(picture):
    result = krlimage.run_lingo('on main\n p = image("a")\n p.setPixel(0, 0, rgb(1, 2, 3))\n p.save("a")\n'
                                ' put image("a").getPixel(0, 0)\nend', {"a": picture})
    assert result.output == "-- rgb( 1, 2, 3 )\n"
    assert tuple(result.images["a"][0, 0, :3]) == (1, 2, 3) and tuple(picture[0, 0, :3]) != (1, 2, 3)


def test_a_mistake_has_its_place(picture):
    with pytest.raises(krlimage.LingoError) as caught:
        krlimage.run_lingo('on main\n  put 1\n  put nothing_like_this()\nend')
    error = caught.value
    assert (error.line, error.output) == (3, "-- 1\n") and error.column > 0 and "^" in error.excerpt
    assert str(error).startswith("line 3, column ")
    with pytest.raises(krlimage.LingoError, match="line 2"):
        krlimage.run_lingo("on main\n if if\nend")
    with pytest.raises(krlimage.LingoError):
        krlimage.run_lingo("")


def test_files_are_out_of_reach(tmp_path, monkeypatch, picture):
    monkeypatch.chdir(tmp_path)
    krlimage.run_lingo('on main\n image("a").save("b.pam")\nend', {"a": picture})
    assert not list(tmp_path.iterdir())
    (tmp_path / "c.pam").write_bytes(b"P7")
    for name in ("c.pam", str(tmp_path / "c.pam"), "../c.pam"):
        with pytest.raises(krlimage.LingoError):
            krlimage.run_lingo(f'on main\n put image("{name}")\nend')


def test_what_is_no_picture_is_named():
    with pytest.raises(TypeError, match=r"images\['a'\]: expected an array"):
        krlimage.run_lingo("on main\nend", {"a": 7})


def test_a_script_that_does_not_end_has_a_limit():
    with pytest.raises(krlimage.LingoError, match="step"):
        krlimage.run_lingo("on main\n repeat while 1\n nothing\n end repeat\nend", steps=1000)
