"""The numbers of functions in recordings."""

_SCAN = """
    Initialize Uninitialize QueryDevices GetDeviceSerial GetVersion GetHandleSerial CreateHandle DestroyHandle
    GetDeviceIndex GetPlugStatus SetCaptureSequence SetStatusLED SetResolution GetResolution SetVSYNC SetGlobalGain
    SetGain GetImage ListEPROMFile ReadEPROMFile SetPropertyA SetPropertyW GetPropertyA GetPropertyW
    GetErrorDescriptionA GetErrorDescriptionW EnableCapture GetImageSequence Beep SetLED SetLEDEx
    ApplyInternalCommand SetCaptureSequenceEx GetImageEx LockRawSequence ReleaseRawSequence SetCaptureMode
    GetPropertyLongA SetPropertyLongA SetPropertyDoubleA GetPropertyDoubleA
"""
_LIVENESS = """
    Initialize Uninitialize CreateFakeDetectionVT40Handle DestroyHandle GetFakeFingerDetectionScore SetPropertyA
    SetPropertyW SetPropertyLongA SetPropertyLongW SetPropertyDoubleA SetPropertyDoubleW GetPropertyA GetPropertyW
    GetPropertyLongA GetPropertyLongW GetPropertyDoubleA GetPropertyDoubleW GetErrorDescriptionA
    GetErrorDescriptionW
"""

FUNCTIONS = {
    **{number: f"VTScanAPI{name}" for number, name in enumerate(_SCAN.split(), 1)},
    **{number: f"FD_VT40{name}" for number, name in enumerate(_LIVENESS.split(), 101)},
}
