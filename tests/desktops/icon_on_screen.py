"""Whether a picture of the screen shows Kivo's icon at a place."""
import statistics

import gi

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402

ICON = "/usr/share/icons/hicolor/scalable/apps/app.kivo.expenses.svg"
ALIKE = 0.9  # at least, of `likeness`
OPAQUE = 255


def _pixel(image, x, y):
    """Red, green, blue, and the opacity where it has one."""
    at = y * image.get_rowstride() + x * image.get_n_channels()
    return image.get_pixels()[at:at + image.get_n_channels()]


def likeness(picture, place):
    """How well the opaque pixels of the icon, drawn in the middle of a place (left, top, width, height), correlate with
    the picture's: 1 for the icon, also where the desktop makes it paler, 0 for anything else."""
    left, top, width, height = place
    side = min(width, height)
    shown = GdkPixbuf.Pixbuf.new_from_file(str(picture)).new_subpixbuf(
        left + (width - side) // 2, top + (height - side) // 2, side, side)
    icon = GdkPixbuf.Pixbuf.new_from_file_at_size(ICON, side, side)
    opaque = [(x, y) for x in range(side) for y in range(side) if _pixel(icon, x, y)[3] == OPAQUE]
    drawn, seen = ([value for x, y in opaque for value in _pixel(image, x, y)[:3]] for image in (icon, shown))
    try:
        return statistics.correlation(drawn, seen)
    except statistics.StatisticsError:  # of one colour
        return 0
