tell application "Music"
  try
    get name of current track
    return "true"
  on error
    return "false"
  end try
end tell
