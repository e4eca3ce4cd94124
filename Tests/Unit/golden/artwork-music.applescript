tell application "Music"
  try
    set d to raw data of artwork 1 of current track
  on error
    return "none"
  end try
end tell
try
  set f to open for access POSIX file "/folder/cover" with write permission
  set eof f to 0
  write d to f
  close access f
  return "ok"
on error
  try
    close access POSIX file "/folder/cover"
  end try
  return "none"
end try
