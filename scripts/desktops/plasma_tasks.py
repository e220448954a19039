"""Started within a Plasma session: answers each line of its input with what the taskbar has."""
import os
import sys

from PyQt5.QtCore import Q_RETURN_ARG, QMetaObject, QSocketNotifier, Qt, QUrl
from PyQt5.QtQml import QQmlComponent, QQmlEngine
from PyQt5.QtWidgets import QApplication

application = QApplication(sys.argv)
engine = QQmlEngine()
component = QQmlComponent(engine, QUrl.fromLocalFile(os.path.splitext(os.path.abspath(__file__))[0] + ".qml"))
tasks = component.create()
if tasks is None:
    sys.exit("\n".join(error.toString() for error in component.errors()))


def answer():
    if not sys.stdin.readline():
        application.quit()
        return
    state = QMetaObject.invokeMethod(tasks, "state", Qt.DirectConnection, Q_RETURN_ARG("QVariant"))
    print(state, flush=True)


questions = QSocketNotifier(sys.stdin.fileno(), QSocketNotifier.Read)
questions.activated.connect(answer)
print("ready", flush=True)
sys.exit(application.exec_())
