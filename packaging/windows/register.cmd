@echo off
rem Enters the raster object into the registry, so that scripts can create ZIRCRaster.ZIRCRaster, or takes it out again:
rem
rem     register.cmd        enters the DLLs that this system can load
rem     register.cmd /u     takes them out
rem
rem Registering needs the rights of an administrator. The DLLs stay where they are, and must not be moved afterwards.
setlocal
set here=%~dp0
set undo=
if /i "%~1"=="/u" set undo=/u
set failed=0

rem 64-bit Windows has a regsvr32 for either kind of DLL. This script may itself be run by the 32-bit command processor.
if /i "%PROCESSOR_ARCHITECTURE%"=="x86" if not defined PROCESSOR_ARCHITEW6432 goto only32
set system=%SystemRoot%\System32
if defined PROCESSOR_ARCHITEW6432 set system=%SystemRoot%\Sysnative
"%system%\regsvr32.exe" /s %undo% "%here%x64\bin\ZKR13N.dll"
if errorlevel 1 set failed=1
if not exist "%SystemRoot%\SysWOW64\regsvr32.exe" goto end
"%SystemRoot%\SysWOW64\regsvr32.exe" /s %undo% "%here%x86\bin\ZKR13N.dll"
if errorlevel 1 set failed=1
goto end

:only32
"%SystemRoot%\System32\regsvr32.exe" /s %undo% "%here%x86\bin\ZKR13N.dll"
if errorlevel 1 set failed=1

:end
if %failed%==1 echo The registry refused: start register.cmd as an administrator.
exit /b %failed%
