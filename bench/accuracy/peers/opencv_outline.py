"""The ten lines that everybody writes: Otsu's split, the largest outline, the smallest rectangle
around it."""
import cv2

from ..answer import Answer, folded

NAME = "OpenCV outline"


def version():
    return "OpenCV " + cv2.__version__


def detect(path):
    grey = cv2.imread(path, cv2.IMREAD_GRAYSCALE)
    _, light = cv2.threshold(grey, 0, 255, cv2.THRESH_OTSU)
    outlines, _ = cv2.findContours(light, cv2.RETR_EXTERNAL, cv2.CHAIN_APPROX_SIMPLE)
    if not outlines:
        return Answer()
    box = cv2.minAreaRect(max(outlines, key=cv2.contourArea))
    return Answer(folded(box[2]), "likely", cv2.boxPoints(box).tolist())
