"""Pictures of the dashboard's views, taken of the running program; script/shots starts it."""
