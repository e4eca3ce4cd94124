tell application "Music"
  try
    if player state is playing then return "true"
  end try
end tell
return "false"
