"""A window with a text field of Qt 5, and the shortcut Control with 1, which inserts "one". Writes the text that it
holds to a file whenever it has changed.
usage: TypingQtView.py TITLE FILE"""

import os
import sys

from PyQt5.QtGui import QKeySequence
from PyQt5.QtWidgets import QApplication, QPlainTextEdit, QShortcut

title, file = sys.argv[1:]
application = QApplication(sys.argv[:1])
view = QPlainTextEdit()


def write():
    with open(file + ".new", "w", encoding="utf-8", newline="") as out:
        out.write(view.toPlainText())
    os.rename(file + ".new", file)


view.textChanged.connect(write)
QShortcut(QKeySequence("Ctrl+1"), view).activated.connect(lambda: view.insertPlainText("one"))
view.setWindowTitle(title)
view.resize(900, 700)
view.show()
sys.exit(application.exec_())
