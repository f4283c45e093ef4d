run Rails.application
