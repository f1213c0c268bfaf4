# tests for brenvik-status (src/app/status.cmake)
