tell application "VLC"
  try
    if playing then return "true"
  end try
end tell
return "false"
