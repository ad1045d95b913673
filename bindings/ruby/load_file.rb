#!/usr/bin/env ruby
# frozen_string_literal: true

# Loads an input file and prints what its cards set: ruby load_file.rb INPUT-FILE

require_relative 'lib/corvale'

def show(name)
  corvale = Corvale::Library.new
  corvale.load_file(name)
  puts "element-set key mode #{corvale.elset_key_mode}, all-key mode #{corvale.all_key_mode}"
  corvale.moic_data(128).each.with_index(1) do |value, number|
    puts "MOIC(#{number}) = #{value}" unless value.zero?
  end
end

begin
  raise ArgumentError, 'usage: load_file.rb INPUT-FILE' unless ARGV.size == 1

  show(ARGV.first)
rescue Corvale::Error, ArgumentError, Fiddle::DLError => e
  warn e.message
  exit 2
end
