#pragma once

#include <QByteArray>

/// Message buses may accept a connection and stay silent, as one does that is stopped. The bus
/// library then waits without end, on a thread that Qt has for all buses; so they are asked first.
namespace tallyglass {

/// Where the session says that its bus is, by the variable or by a socket in the usual place. Empty
/// without either: the bus library would then try to start a bus of its own.
QByteArray sessionBusAddress();

/// Whether a bus accepts connections but says nothing within a second. One that is missing, or
/// that cannot be asked in this way, is not silent.
bool isSilentBus(const QByteArray &address);

/// Has the bus library find nothing where a silent bus is. To be called before anybody connects,
/// for it reads the addresses once.
void leaveOutSilentBuses();

} // namespace tallyglass
